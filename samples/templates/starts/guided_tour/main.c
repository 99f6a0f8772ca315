/* The main script of the guided tour. Native functions of the game go here. */

void game_start(void)
{
}
