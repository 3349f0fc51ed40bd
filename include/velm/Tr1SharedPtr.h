/// @file
/// std::tr1::shared_ptr, the pointer of the adapter rules.
#pragma once

#include <memory>

/// @def VELM_TR1_SHARED_PTR_IS_STD
/// 1 where std::tr1::shared_ptr is std::shared_ptr itself: in every standard library but GNU's, which still
/// has TR1's own.
#if defined(__GLIBCXX__)
#include <tr1/memory>
#define VELM_TR1_SHARED_PTR_IS_STD 0
#else
namespace std {
namespace tr1 {
using std::shared_ptr;
}  // namespace tr1
}  // namespace std
#define VELM_TR1_SHARED_PTR_IS_STD 1
#endif
