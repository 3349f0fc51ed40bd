#include "velm/AutoResetSyncEventWrapper.h"

namespace velm {

AutoResetSyncEventWrapper::AutoResetSyncEventWrapper() : mEvent(false, false) {}

AutoResetSyncEventWrapper::~AutoResetSyncEventWrapper() = default;

ErrorCode AutoResetSyncEventWrapper::Initialize() {
    return 0;
}

ErrorCode AutoResetSyncEventWrapper::Terminate() {
    return 0;
}

ErrorCode AutoResetSyncEventWrapper::Wait() {
    return mEvent.Wait();
}

ErrorCode AutoResetSyncEventWrapper::Trigger() {
    return mEvent.Set();
}

}  // namespace velm
