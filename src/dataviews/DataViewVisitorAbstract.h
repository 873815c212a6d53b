#pragma once

#include "dataviews/DataViewVisitorInterface.h"

#include <cstdint>

/// A visitor whose every visit overload falls through to visitAnyViewType(), which does
/// nothing. A subclass overrides the overloads of the kinds it handles (bring the others in with
/// `using DataViewVisitorAbstract::visit;`).
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT DataViewVisitorAbstract
  : public DataViewVisitorInterface
{
public:
  /// Kept for subclasses that want to complain about kinds they do not handle; it has no effect
  /// here.
  enum AssertStatus : std::int32_t
  {
    AssertOnUnhandledViewType = 0,
    IgnoreUnhandledViewType = 1
  };

  /// IgnoreUnhandledViewType.
  DataViewVisitorAbstract();
  explicit DataViewVisitorAbstract(AssertStatus status);
  DataViewVisitorAbstract(const DataViewVisitorAbstract& other);
  ~DataViewVisitorAbstract() override;

  void visit(boost::shared_ptr<TableViewInterface> view) override;
  void visit(boost::shared_ptr<SelectedImageViewInterface> view) override;
  void visit(boost::shared_ptr<SelectedCasesViewInterface> view) override;
  void visit(boost::shared_ptr<ScatterPlot3DInterface> view) override;
  void visit(boost::shared_ptr<ScatterPlot2DInterface> view) override;
  void visit(boost::shared_ptr<LinePlotInterface> view) override;
  void visit(boost::shared_ptr<ImageMatrixViewInterface> view) override;
  void visit(boost::shared_ptr<ImageDiffViewInterface> view) override;

  AssertStatus assertStatus() const;

protected:
  /// Runs for every kind the subclass does not handle; does nothing here.
  virtual void visitAnyViewType();

private:
  AssertStatus status;
};
