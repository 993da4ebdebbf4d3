// The numbers of the test's resources.
#pragma once

#define IDB_TRUE_COLOR 10
#define IDB_INDEXED 11
// What no bitmap can be made of.
#define IDB_NO_PIXELS 20
#define IDB_TOO_MANY_COLORS 21
#define IDB_LONG_HEADER 22
#define IDB_COMPRESSED 23
#define IDB_NO_WIDTH 24
#define IDB_NO_HEADER 25
#define IDB_HUGE 26
