// Templates of dialogs in memory. Only the published interface.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

namespace dialogtest {

struct TemplateItem {
    WORD id;
    const char* className;
    const char* text;
    DWORD style;
    SHORT x, y, width, height;
};

constexpr DWORD kPush = 0x50010000, kDefault = 0x50010001, kCheck = 0x50010003;

// The binary form of a dialog without menu and class, as a resource compiler writes it.
class Template {
public:
    template <size_t kCount>
    Template(DWORD style, SHORT x, SHORT y, SHORT width, SHORT height, const TemplateItem (&items)[kCount]) {
        Add(DLGTEMPLATE{style, 0, kCount, x, y, width, height});
        Add(WORD{0}), Add(WORD{0}), Text("A dialog");
        Add(WORD{8}), Text("MS Sans Serif");
        for (const TemplateItem& item : items) {
            bytes_.resize((bytes_.size() + 3) / 4 * 4);
            Add(DLGITEMTEMPLATE{item.style, 0, item.x, item.y, item.width, item.height, item.id});
            Class(item.className);
            Text(item.text);
            Add(WORD{0});
        }
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(bytes_.data()); }

private:
    template <typename Value>
    void Add(const Value& value) {
        const auto* from = reinterpret_cast<const uint8_t*>(&value);
        bytes_.insert(bytes_.end(), from, from + sizeof(value));
    }
    void Text(const char* text) {
        for (; *text != '\0'; ++text) Add(static_cast<WORD>(*text));
        Add(WORD{0});
    }
    void Class(const std::string& name) {
        const WORD number = name == "BUTTON" ? 0x80 : name == "STATIC" ? 0x82 : 0;
        if (number == 0) return Text(name.c_str());
        Add(WORD{0xFFFF}), Add(number);
    }

    std::vector<uint8_t> bytes_;
};

}  // namespace dialogtest
