#include "EmptyCall.h"

unsigned int EmptyCall(unsigned char*, unsigned int size) {
    return size;
}
