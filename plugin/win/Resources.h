// Numbers of the resources; read by the resource compiler too.
#pragma once

#define IDI_ZOKA 1

#define IDD_PANEL 1001  // the panels: what the number given to a panel's thread selects
