#pragma once

#include <QString>

#include <ostream>

namespace explorer
{

class ExplorerWindow;

/// Renders the window and each view to PNG files in a folder, writes the view settings and the
/// shown cases there, and prints a summary of what the views show. False, with the reason in
/// `error`, when a file cannot be written.
bool writeScreenshots(ExplorerWindow& window,
                      const QString& folder,
                      std::ostream& summary,
                      QString& error);

} // namespace explorer
