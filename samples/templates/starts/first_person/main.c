/* The main script of a first-person project. Native functions of the game go here. */

void game_start(void)
{
}
