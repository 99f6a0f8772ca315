/* The main script of a new project. Native functions of the game go here. */

void game_start(void)
{
}
