#include "platform/user/DialogTemplate.h"

#include <cstring>

#include "platform/kernel/Utf16Text.h"

namespace tdkp {
namespace {

constexpr WORD kOrdinal = 0xFFFF;
constexpr size_t kItemAlignment = 4;

// Goes through the bytes of a template; everything behind its end reads as 0 and leaves it broken.
class Reader {
public:
    Reader(const void* data, size_t size) : data_(static_cast<const uint8_t*>(data)), size_(size) {}

    bool Broken() const { return broken_; }
    WORD Word() { return Read<WORD>(); }

    template <typename Value>
    Value Read() {
        Value value = {};
        if (Skip(sizeof(Value))) std::memcpy(&value, data_ + at_ - sizeof(Value), sizeof(Value));
        return value;
    }

    bool Skip(size_t bytes) {
        broken_ = broken_ || bytes > size_ - at_;
        if (!broken_) at_ += bytes;
        return !broken_;
    }

    void Align() { Skip((kItemAlignment - at_ % kItemAlignment) % kItemAlignment); }

    // A text, or "#" and a number.
    std::string Name() {
        const WORD first = Word();
        if (first == kOrdinal) return "#" + std::to_string(Word());
        std::u16string text;
        for (WORD unit = first; unit != 0; unit = Word()) text += static_cast<char16_t>(unit);
        return TextFromUtf16(text);
    }

private:
    const uint8_t* data_;
    size_t size_;
    size_t at_ = 0;
    bool broken_ = false;
};

// Controls may name their class by a number.
std::string ClassOf(const std::string& name) {
    if (name == "#128") return "Button";
    return name == "#130" ? "Static" : name;
}

DialogItem ReadItem(Reader& reader) {
    DialogItem item;
    reader.Align();
    item.layout = reader.Read<DLGITEMTEMPLATE>();
    item.className = ClassOf(reader.Name());
    item.title = reader.Name();
    const WORD creationBytes = reader.Word();  // counted with this word
    if (creationBytes > sizeof(WORD)) reader.Skip(creationBytes - sizeof(WORD));
    return item;
}

}  // namespace

std::optional<DialogLayout> ReadDialogTemplate(const void* data, size_t size) {
    Reader reader(data, size);
    DialogLayout dialog;
    dialog.layout = reader.Read<DLGTEMPLATE>();
    const std::string menu = reader.Name();
    const std::string className = reader.Name();
    if (!menu.empty() || !className.empty()) return std::nullopt;
    dialog.title = reader.Name();
    if ((dialog.layout.style & DS_SETFONT) != 0) {
        dialog.pointSize = reader.Word();
        dialog.faceName = reader.Name();
    }
    for (int i = 0; i < dialog.layout.cdit && !reader.Broken(); ++i) dialog.items.push_back(ReadItem(reader));
    return reader.Broken() ? std::nullopt : std::make_optional(dialog);
}

}  // namespace tdkp
