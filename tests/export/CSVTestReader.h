#pragma once

#include <string>
#include <vector>

/// Splits CSV text into rows of fields, with RFC 4180 quoting (a doubled quote inside quotes is
/// one quote; quoted fields may hold commas and line breaks). Only for reading back in tests.
std::vector<std::vector<std::string>> readCSV(const std::string& text);
