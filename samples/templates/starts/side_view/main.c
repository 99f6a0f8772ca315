/* The main script of a side-view project. Native functions of the game go here. */

void game_start(void)
{
}
