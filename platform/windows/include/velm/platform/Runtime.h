/// @file
/// What Windows' C runtime adds to standard C, as far as the libraries call it.
#pragma once

#include <stdio.h>
