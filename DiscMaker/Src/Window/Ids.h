#pragma once

// Disc Maker's own resources and commands. Read by the compiler and by windres.

#define IDR_MAIN 100
#define IDR_CANVAS 101
#define IDD_TEXT 102
#define IDD_DISC 103
#define IDB_TOOLS 104
#define IDB_LARGE_TOOLS 105
#define IDI_DISC_MAKER 1014

#define ID_NEW 1000
#define ID_OPEN 1001
#define ID_OPEN_FOLDER 1002
#define ID_SAVE 1003
#define ID_SAVE_LAUNCHER 1004
#define ID_SAVE_FOLDER 1005
#define ID_EXIT 1006
#define ID_UNDO 1007
#define ID_REDO 1008
#define ID_CUT 1009
#define ID_COPY 1010
#define ID_COPY_SKIN 1011
#define ID_PASTE 1012
#define ID_SELECT_ALL 1013
#define ID_EDIT_TEXT 1014
#define ID_ZOOM_IN 1015
#define ID_ZOOM_OUT 1016
#define ID_ACTUAL_SIZE 1017
#define ID_ZONES 1018
#define ID_SNAP 1019
#define ID_GO_CANVAS 1020
#define ID_GO_PROPERTIES 1021
#define ID_GO_PROBLEMS 1022
/* In the order of the enumeration Arrangement. */
#define ID_ARRANGE 1023
#define ID_ALIGN_LEFT 1023
#define ID_ALIGN_RIGHT 1024
#define ID_ALIGN_TOP 1025
#define ID_ALIGN_BOTTOM 1026
#define ID_ALIGN_CENTER 1027
#define ID_ALIGN_MIDDLE 1028
#define ID_SPACE_ACROSS 1029
#define ID_SPACE_DOWN 1030
#define ID_SHARE_COLORS 1031
#define ID_CONTENTS 1032
#define ID_PREVIEW 1033
#define ID_MAKE_DISC 1034
#define ID_HELP_PAGE 1035
#define ID_ABOUT 1036
#define ID_LAST 1036

#define ID_RECENT 1100

#define IDC_TEXT 200
#define IDC_CONTENTS 201
#define IDC_CHOOSE_CONTENTS 202
#define IDC_OUT 203
#define IDC_CHOOSE_OUT 204
#define IDC_STATE 205
#define IDC_PROGRESS 206
