#pragma once

#include <string>
#include <string_view>

#include "velm/JsonConfigReader.h"

namespace velm {

/// Parses the first JSON value of a text like picojson::parse, and with the same error messages, except that
/// - picojson's nesting limit applies to arrays and objects together, not to arrays alone;
/// - a number out of the range of a double is a syntax error;
/// - numbers are read by ParseJsonNumber.
/// @param value  out: after a syntax error, what precedes it; unchanged if the text is nested too deeply
/// @param error  out: the message after an error, otherwise unchanged
void ParseJson(std::string_view text, picojson::value& value, std::string& error);

}  // namespace velm
