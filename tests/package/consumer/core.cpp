#include <velm/core/PathHelper.h>

#include <cstdio>
#include <cstring>

int main() {
    char folder[64];
    const velm::ErrorCode result = velm::PathHelper::GetFileDir(folder, sizeof folder, "D:\\app\\a.exe");
    std::printf("folder: %s\n", folder);
    return !result.IsFailed() && std::strcmp(folder, "D:\\app") == 0 ? 0 : 1;
}
