// ChangeNotification: the waitable side of a watched folder.
#pragma once

#include <string>

#include "platform/kernel/ChangeWatch.h"
#include "platform/kernel/HandleTable.h"

namespace tdkp {

// Signalled from the first change until it is armed again; a change in between signals it anew then.
class ChangeNotification : public WaitableObject {
public:
    ChangeNotification(std::string folder, bool withSubfolders) : watch_(std::move(folder), withSubfolders) {}
    ~ChangeNotification() override { Close(); }

    // NO_ERROR, or why it can't be.
    DWORD Open();
    // Ends the watching; what waits for it waits on. The last of all ends the reader's thread.
    void Close();

    bool IsSignalled() const override { return signalled_; }
    // False if the folder has gone.
    bool Arm(DispatcherGuard& guard);

    // For the reader.
    int Descriptor() const { return watch_.Descriptor(); }
    void TakeNews();

private:
    ChangeWatch watch_;  // the reader's own from Open to Close

    // Guarded by the dispatcher's lock.
    bool signalled_ = false;
    bool changedSince_ = false;
    bool lost_ = false;
    bool isOpen_ = false;
};

}  // namespace tdkp
