#include "dataviews/PxWaitCursor.h"

#include <QCursor>
#include <QGuiApplication>

// A host without a GUI application (a command-line tool using the synchronisers) has no cursor
// to change; Qt must not be asked to then.
PxWaitCursor::PxWaitCursor()
{
  if (QGuiApplication::instance())
  {
    QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
  }
}

PxWaitCursor::~PxWaitCursor()
{
  if (QGuiApplication::instance())
  {
    QGuiApplication::restoreOverrideCursor();
  }
}
