#include "platform/gdi/TextLayout.h"

#include <windows.h>

#include <algorithm>

#include "platform/kernel/Utf16Text.h"

namespace tdkp {
namespace {

constexpr const char* kEllipsis = "...";
constexpr int kTabColumns = 8;

// One line up to a line end, which is taken off `rest`. With DT_SINGLELINE line ends count as blanks.
std::string_view TakeLine(std::string_view* rest, bool single) {
    const size_t end = single ? std::string_view::npos : rest->find_first_of("\r\n");
    const std::string_view line = rest->substr(0, end);
    if (end == std::string_view::npos) {
        *rest = {};
        return line;
    }
    const bool pair = rest->substr(end, 2) == "\r\n";
    rest->remove_prefix(end + (pair ? 2 : 1));
    return line;
}

// Takes the prefix characters out; the character behind the last single one is to be underlined.
TextLine WithoutPrefixes(std::string_view text, UINT format) {
    TextLine line;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && (format & DT_NOPREFIX) == 0) {
            if (++i == text.size()) break;
            if (text[i] != '&') line.underlined = line.text.size();
        }
        if (text[i] == '\t' && (format & DT_EXPANDTABS) != 0)
            line.text.append(kTabColumns - line.text.size() % kTabColumns, ' ');
        else
            line.text += text[i];
    }
    return line;
}

// The longest beginning that fits together with an ellipsis, but at least one character.
void Shorten(const FontFace& face, int width, TextLine& line) {
    if (face.Advance(line.text) <= width) return;
    const int room = width - face.Advance(kEllipsis);
    size_t kept = line.text.size();
    while (kept > 0 && face.Advance(std::string_view(line.text).substr(0, kept)) > room) {
        do --kept;
        while (kept > 0 && IsContinuation(line.text[kept]));
    }
    if (kept == 0 && !line.text.empty()) kept = CharacterLength(line.text, 0);
    line.text.resize(kept);
    if (line.underlined != TextLine::kNone && line.underlined >= kept) line.underlined = TextLine::kNone;
    line.text += kEllipsis;
}

// The end of the part of `text` that fits, at a blank; a word that is wider than the line stays whole.
size_t BreakAt(const FontFace& face, std::string_view text, int width) {
    size_t fits = 0;
    for (size_t blank = text.find(' ');; blank = text.find(' ', blank + 1)) {
        const size_t end = std::min(blank, text.size());
        if (fits != 0 && face.Advance(text.substr(0, end)) > width) return fits;
        fits = end;
        if (blank == std::string_view::npos) return fits;
    }
}

void AppendWrapped(const FontFace& face, const TextLine& whole, int width, std::vector<TextLine>* lines) {
    size_t start = 0;
    do {
        const std::string_view rest = std::string_view(whole.text).substr(start);
        const size_t length = BreakAt(face, rest, width);
        TextLine line;
        line.text = rest.substr(0, length);
        if (whole.underlined != TextLine::kNone && whole.underlined - start < length)
            line.underlined = whole.underlined - start;
        lines->push_back(std::move(line));
        start += length;
        while (start < whole.text.size() && whole.text[start] == ' ') ++start;
    } while (start < whole.text.size());
}

}  // namespace

size_t CharacterLength(std::string_view text, size_t at) {
    size_t end = at + 1;
    while (end < text.size() && IsContinuation(text[end])) ++end;
    return end - at;
}

std::vector<TextLine> LayOutText(const FontFace& face, std::string_view text, UINT format, int width) {
    std::vector<TextLine> lines;
    const bool single = (format & DT_SINGLELINE) != 0;
    do {
        TextLine line = WithoutPrefixes(TakeLine(&text, single), format);
        if ((format & DT_WORDBREAK) != 0 && !single)
            AppendWrapped(face, line, width, &lines);
        else
            lines.push_back(std::move(line));
    } while (!text.empty());
    for (TextLine& line : lines) {
        if ((format & DT_END_ELLIPSIS) != 0) Shorten(face, width, line);
        line.width = face.Advance(line.text);
    }
    return lines;
}

}  // namespace tdkp
