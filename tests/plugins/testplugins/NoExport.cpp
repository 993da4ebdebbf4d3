// A library that is no plug-in.
#include "tests/plugins/testplugins/TestPlugin.h"

TDKVIZ_EXPORT int SomethingElse() {
    return 1;
}
