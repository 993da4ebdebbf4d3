// The numbers of the add-on's resources and of the settings dialog's controls, for C++ and for tdkviz.rc.
#pragma once

// Texts.
#define IDS_BUTTON_LABEL 1
#define IDS_NONE_SELECTED 2

// Bitmaps: the button's pictures, the lamp of the dialog.
#define IDB_EFFECTS_OFF 102
#define IDB_EFFECTS_ON 104
#define IDB_LAMP_DARK 109
#define IDB_LAMP_LIT 110

// The settings dialog.
#define IDD_SETTINGS 273
#define IDC_CLOSE 1005
#define IDC_HELP_TOPIC 1006
#define IDC_ROTATE 1035
#define IDC_ZOOM 1036
#define IDC_SLIDE 1037
#define IDC_FADE 1038
#define IDC_BLUR 1039
#define IDC_RANDOMIZE 1040
#define IDC_PLUGIN_NAME 1042
#define IDC_ALWAYS_ON_TOP 1049
#define IDC_CONFIGURE 1050
#define IDC_USE_DIRECTDRAW 1051
#define IDC_ON_OFF 1110
#define IDC_RESET 1111
#define IDC_FRAME_RATE 1444
#define IDC_LAMP 1524
// Controls that nobody asks for.
#define IDC_UNNAMED 65535
