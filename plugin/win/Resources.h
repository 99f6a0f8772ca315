// Numbers of the dialog resources and their controls; read by the resource compiler too.
#pragma once

#define IDI_ZOKA 1

#define IDD_PANEL 1001   // the panels: what the number given to a panel's thread selects
#define IDD_STATUS 1002  // the modal windows that show a status

#define IDC_STATUS 1010  // first status line; the others follow
#define IDC_STATUS_LAST 1013
