// What a probe finds, and how it gets from the process that tries a plug-in to its parent: one line for each finding,
// a letter and a text.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace tdkplay::check {

// In order of gravity; a check that is skipped finds nothing else.
enum class Verdict { kPass, kWarning, kFail, kSkipped };

struct Finding {
    Verdict Kind;      // kPass: a note
    std::string Text;  // one line
};

// The text on one line and in ASCII: a plug-in's own texts have any code page, and may be anything.
std::string PlainText(std::string text);

// A fault against the contract that ends a probe. Never crosses an interface.
class ContractFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The process's side. Each finding is on its way when the call comes back.
class FindingWriter {
public:
    explicit FindingWriter(int pipe) : pipe_(pipe) {}

    void Note(const std::string& text) { Write(Verdict::kPass, text); }
    void Warn(const std::string& text) { Write(Verdict::kWarning, text); }
    void Fail(const std::string& text) { Write(Verdict::kFail, text); }
    void Skip(const std::string& text) { Write(Verdict::kSkipped, text); }
    // The probe has come to its end: what ends the process now isn't the plug-in.
    void End();

private:
    void Write(Verdict kind, const std::string& text);
    void Send(const std::string& line);

    const int pipe_;
};

// The parent's side: `text` is all that came.
struct SentFindings {
    explicit SentFindings(const std::string& text);

    std::vector<Finding> All;
    bool HasEnded = false;
};

}  // namespace tdkplay::check
