#pragma once

// The launcher's resource ids, the same in every skin. Read by the compiler and by windres.

#define IDD_AUTORUN 100

#define IDI_AUTORUN 2

#define IDB_BACKGROUND 200
#define IDB_PRODUCT 309
#define IDB_BULLET 311

// Entries of the string table; README.md says what each one holds.
#define IDS_SETUP 1
#define IDS_EXIT 2
#define IDS_EXIT_POS 5
#define IDS_SETUP_POS 6
#define IDS_ABOUT_RECT 7
#define IDS_CAPTION 9
#define IDS_SETUP_COMMAND 10
#define IDS_HIGHLIGHT_COLOR 11
#define IDS_SPARE_COLOR 12
#define IDS_ITEM_FONT 13
#define IDS_ABOUT_FONT 14
#define IDS_RUN 20
#define IDS_HELP 21
#define IDS_RUN_POS 24
#define IDS_HELP_POS 25
#define IDS_RUN_COMMAND 26
#define IDS_HELP_COMMAND 27
#define IDS_TITLE 28
#define IDS_TITLE_POS 30
#define IDS_TITLE_FONT 32
#define IDS_PRODUCT_POS 33
#define IDS_PRODUCT_ICON_POS 34
#define IDS_ABOUT 35
#define IDS_HELP_ICON_POS 36
#define IDS_RUN_ICON_POS 37
#define IDS_SETUP_ICON_POS 38
#define IDS_EXIT_ICON_POS 39
// The launcher does not read this one: it is the label of the disc.
#define IDS_DISC_LABEL 40
