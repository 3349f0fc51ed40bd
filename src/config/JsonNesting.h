#pragma once

#include <cstddef>
#include <string_view>

namespace velm {

/// Looks for brackets that are nested too deep, ahead of a parser that recurses into them.
/// @param mostDeep  the levels that are allowed, of arrays and objects together
/// @return the place of the first bracket in the text's first JSON value that goes deeper; npos when none
/// does
std::size_t FindTooDeep(std::string_view text, int mostDeep);

}  // namespace velm
