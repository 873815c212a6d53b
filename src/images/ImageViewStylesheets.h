#pragma once

#include "quen_analyzer_dataviews_common_export.h"

#include <QString>

/// The style sheet of image table views, from the application's settings under
/// "ImageTableViewStylesheet". The first call stores the default,
/// "QTableView{background-color:lightgray}", where a user may edit it.
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT QString imageTableViewStylesheet();

/// The same for image list views: "ImageListViewStylesheet", default
/// "QListView{background-color:lightgray}".
QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT QString imageListViewStylesheet();
