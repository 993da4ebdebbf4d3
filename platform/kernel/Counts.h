// How many things of the layer live in this process; TdkpCount reads them.
#pragma once

#include <cstdint>

namespace tdkp {

// Any thread. `change` is +1 when one is made and -1 when it has gone.
void CountHandle(int32_t change);
void CountWindow(int32_t change);
void CountGdiObject(int32_t change);
void CountThread(int32_t change);
void CountDirectDraw(int32_t change);

}  // namespace tdkp
