/// @file
/// velm::Tr1SharedPtr, the pointer of the adapter rules: std::tr1::shared_ptr.
#pragma once

#include <memory>

/// @def VELM_TR1_SHARED_PTR_IS_STD
/// 1 where std::tr1::shared_ptr is std::shared_ptr itself: in every standard library but GNU's, which still
/// has TR1's own.
#if defined(__GLIBCXX__)
#include <tr1/memory>
#define VELM_TR1_SHARED_PTR_IS_STD 0
#else
#define VELM_TR1_SHARED_PTR_IS_STD 1
#if !defined(_HAS_TR1_NAMESPACE) || !_HAS_TR1_NAMESPACE
namespace std {
namespace tr1 {
using std::shared_ptr;
}  // namespace tr1
}  // namespace std
#endif
#endif

namespace velm {

// Visual C++ deprecates its std::tr1 (STL4002), so the headers name it only where it is a type of its own.
#if VELM_TR1_SHARED_PTR_IS_STD
/// The pointer of the adapter rules.
template <class T>
using Tr1SharedPtr = std::shared_ptr<T>;
#else
/// The pointer of the adapter rules.
template <class T>
using Tr1SharedPtr = std::tr1::shared_ptr<T>;
#endif

}  // namespace velm
