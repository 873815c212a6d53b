#pragma once

#include "qxt/QxtGui_export.h"

#include <QFrame>

#include <memory>

/// A label that can draw its text rotated: upside down, or by 90 degrees either way, for
/// vertical headers. Its size hints follow the rotation.
class QXTGUI_EXPORT QxtLabel : public QFrame
{
  Q_OBJECT

public:
  enum Rotation
  {
    NoRotation = 0,
    UpsideDown = 180,
    Clockwise = 90,
    CounterClockwise = 270
  };

  explicit QxtLabel(QWidget* parent = nullptr);
  explicit QxtLabel(const QString& text, QWidget* parent = nullptr);
  ~QxtLabel() override;

  QString text() const;
  Qt::Alignment alignment() const;
  void setAlignment(Qt::Alignment alignment);
  Qt::TextElideMode elideMode() const;
  void setElideMode(Qt::TextElideMode mode);
  Rotation rotation() const;
  void setRotation(Rotation rotation);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

public Q_SLOTS:
  void setText(const QString& text);

Q_SIGNALS:
  void textChanged(const QString& text);
  void clicked();

protected:
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  bool isVertical() const;

  struct Private;
  std::unique_ptr<Private> d;
};
