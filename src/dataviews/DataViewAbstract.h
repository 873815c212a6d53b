#pragma once

#include "dataviews/DataViewInterface.h"

#include <memory>

class SelectionModelInterface;

namespace plexa
{
template<typename T>
class Property;
}

/// The common implementation of the data views: it owns the view's serializer, shares the
/// application's master selection, holds the mouse-mode property (every view starts in Select),
/// and turns a click into a selection (see adjustSelectionForMouseClickAtPoint).
///
/// Copying a view transfers its serializer: the copy constructor and assignment take a
/// non-const source and leave it without a serializer, while both views then share one
/// selection model and one mouse-mode property.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT DataViewAbstract : public virtual DataViewInterface
{
public:
  DataViewAbstract(std::unique_ptr<SerializerInterface> serializer,
                   boost::shared_ptr<SelectionModelInterface> selectionModel);
  DataViewAbstract(DataViewAbstract& other);
  DataViewAbstract& operator=(DataViewAbstract& other);
  ~DataViewAbstract() override;

  /// The owned serializer. Throws std::logic_error on a view whose serializer was taken over by
  /// a copy.
  SerializerInterface& serializer() override;
  /// serializer().name().
  std::string domName() const override;
  /// A click at the mouse position: on empty space the master selection is cleared; on a case
  /// that is already selected (alone or among others) nothing changes, so that a multiple
  /// selection survives a click inside it; on any other case that case becomes the only
  /// selected one. Modifier keys are not read here.
  void adjustSelectionForMouseClickAtPoint() override;

protected:
  boost::shared_ptr<plexa::PropertyAbstract<MouseMode>> mouseMode() const override;
  /// The case under the mouse, if any. The default finds none and leaves caseID alone.
  virtual bool caseIDAtPoint(unsigned long long& caseID);

private:
  SerializerInterface& ownedSerializerOrThrow() const;

  std::unique_ptr<SerializerInterface> ownedSerializer;
  boost::shared_ptr<SelectionModelInterface> selectionModel;
  boost::shared_ptr<plexa::Property<MouseMode>> mouseModeProperty;
};
