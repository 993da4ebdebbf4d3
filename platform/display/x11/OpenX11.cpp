#include "platform/display/x11/OpenX11.h"

#include "platform/display/x11/X11Connection.h"
#include "platform/display/x11/X11Display.h"

namespace tdkp {

std::unique_ptr<Display> OpenX11Display(DisplaySink& sink) {
    std::shared_ptr<X11Connection> connection = X11Connection::Open();
    return connection ? std::make_unique<X11Display>(std::move(connection), sink) : nullptr;
}

bool CanOpenX11Display() {
    return X11Connection::Open() != nullptr;
}

bool IsX11Thread() {
    return X11EventReader::OfThisThread() != nullptr;
}

void AskX11ThreadToEnd() {
    if (X11EventReader* reader = X11EventReader::OfThisThread()) reader->AskToEnd();
}

}  // namespace tdkp
