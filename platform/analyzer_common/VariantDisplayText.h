#pragma once

#include "analyzer_common/quen_analyzer_common_export.h"
#include "common/Variant.h"

#include <string>

/// The text shown to a user for a value in captions and labels: texts as they are, integers in
/// full, doubles with up to 6 significant digits ("0.333333", "1.5e+07"), "NaN" for a missing
/// number, "true"/"false", and "" for the empty value.
QUEN_ANALYZER_COMMON_EXPORT std::string variantDisplayText(const Variant& value);
