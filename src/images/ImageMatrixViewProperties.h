#pragma once

#include "common/Variant.h"
#include "images/ImageViewProperties.h"

#include <cstdint>

/// The layout settings of the image matrix, on top of the image-view settings: what the rows,
/// the columns and the pages stand for. A new object dimensions rows and columns by variable
/// (the columns by the project's first discrete variable, the rows by its second, the page
/// variable its third) and has no pages. Every setting is undoable and named for the editors.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageMatrixViewProperties : public ImageViewProperties
{
public:
  /// ByTag: one entry per tag to show (allTagsToShow); a file belongs to each tag it carries.
  /// ByVariable: one entry per distinct value of the variable; a case belongs to its value.
  enum RowColumnDimensionBy : std::int32_t
  {
    ByTag = 0,
    ByVariable = 1
  };

  /// NoPages: everything is shown. PageByTag: only files carrying the page value's tag.
  /// PageByVariable: only cases whose page variable equals the page value. (Prefixed, since the
  /// enumerators share the class scope with those of RowColumnDimensionBy.)
  enum PageDimensionBy : std::int32_t
  {
    NoPages = 0,
    PageByTag = 1,
    PageByVariable = 2
  };

  ImageMatrixViewProperties();
  ~ImageMatrixViewProperties() override;

  virtual boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> rowVar() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<RowColumnDimensionBy>> dimensionRowsBy() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> columnVar() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<RowColumnDimensionBy>> dimensionColumnsBy()
    const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<WeakPtr<Variable>>> pageVar() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<Variant>> pageValue() const;
  virtual boost::shared_ptr<plexa::PropertyAbstract<PageDimensionBy>> dimensionPagesBy() const;

private:
  struct Impl;
  std::unique_ptr<Impl> d;
};
