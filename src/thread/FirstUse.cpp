#include "thread/FirstUse.h"

namespace velm {
namespace {

constinit FirstUseObject* g_newest = nullptr;

struct Unload {
    ~Unload() { FirstUseObject::DestroyAll(); }
};

const Unload g_unload;

}  // namespace

void FirstUseObject::DestroyAll() {
    while (g_newest != nullptr) {
        FirstUseObject& object = *g_newest;
        g_newest = object.m_older;
        object.m_destroy(object);
    }
}

void FirstUseObject::Register() {
    m_older = g_newest;
    g_newest = this;
}

}  // namespace velm
