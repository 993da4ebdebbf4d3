#include "player/check/Findings.h"

#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <string_view>

namespace tdkplay::check {
namespace {

constexpr std::string_view kLetters = "PWFS";  // in the order of Verdict
constexpr char kEndLetter = 'E';

}  // namespace

std::string PlainText(std::string text) {
    for (char& c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < ' ') c = ' ';
        if (code > '~') c = '?';
    }
    return text;
}

void FindingWriter::Write(Verdict kind, const std::string& text) {
    Send(kLetters[static_cast<size_t>(kind)] + PlainText(text));
}

void FindingWriter::End() {
    Send(std::string(1, kEndLetter));
}

void FindingWriter::Send(const std::string& line) {
    const std::string whole = line + '\n';
    for (size_t sent = 0; sent < whole.size();) {
        const ssize_t count = write(pipe_, whole.data() + sent, whole.size() - sent);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;  // the parent has gone
        sent += static_cast<size_t>(count);
    }
}

SentFindings::SentFindings(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) continue;
        const size_t kind = kLetters.find(line[0]);
        if (kind != std::string_view::npos) All.push_back({static_cast<Verdict>(kind), line.substr(1)});
        HasEnded = HasEnded || line[0] == kEndLetter;
    }
}

}  // namespace tdkplay::check
