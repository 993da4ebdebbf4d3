// Reads a dialog's template in its binary form.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace tdkp {

struct DialogItem {
    DLGITEMTEMPLATE layout = {};
    std::string className;
    std::string title;  // "#" and the number for one that names a resource
};

struct DialogLayout {
    DLGTEMPLATE layout = {};
    std::string title;
    std::string faceName;  // empty: the system's font
    WORD pointSize = 0;
    std::vector<DialogItem> items;
};

// Nothing if the template is of another form, or longer than `size` bytes.
std::optional<DialogLayout> ReadDialogTemplate(const void* data, size_t size);

}  // namespace tdkp
