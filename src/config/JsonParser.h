#pragma once

#include <string>
#include <string_view>

#include "velm/JsonConfigReader.h"

namespace velm {

/// Parses the first JSON value of a text, as picojson::parse does and with its messages, except that
/// - arrays and objects together nest up to picojson's limit, which by itself counts arrays only;
/// - a number that no double holds is a syntax error;
/// - numbers are read by ParseJsonNumber.
/// @param value  out; after a syntax error, what was read up to it; unchanged when the text is nested too
/// deep
/// @param error  out: the message after an error, otherwise unchanged
void ParseJson(std::string_view text, picojson::value& value, std::string& error);

}  // namespace velm
