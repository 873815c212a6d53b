#pragma once

#include "common_vtk/quen_common_vtk_export.h"

#include <vtkSmartPointer.h>
#include <vtkType.h>

#include <memory>

namespace vtkArrayOverDetail
{
/// Keeps `owner` until VTK frees the buffer that starts at `values`.
QUEN_COMMON_VTK_EXPORT void keepUntilFreed(const void* values, std::shared_ptr<const void> owner);
/// What VTK calls to free such a buffer: lets go of one owner kept for it.
QUEN_COMMON_VTK_EXPORT void releaseKept(void* values);
} // namespace vtkArrayOverDetail

/// A VTK array over values something else owns, read in place: ten million values are not copied
/// to be drawn or filtered. `owner` is kept until VTK frees the array's buffer, which its shallow
/// copies share, so the array may outlive whoever made it. The values must not change while such
/// an array lives; VTK copies them before it ever grows the array.
template<typename ArrayT>
vtkSmartPointer<ArrayT> vtkArrayOver(const typename ArrayT::ValueType* values,
                                     vtkIdType tuples,
                                     int components,
                                     std::shared_ptr<const void> owner)
{
  auto array = vtkSmartPointer<ArrayT>::New();
  array->SetNumberOfComponents(components);
  if (!values || tuples <= 0)
    return array;
  vtkArrayOverDetail::keepUntilFreed(values, std::move(owner));
  array->SetArray(const_cast<typename ArrayT::ValueType*>(values),
                  tuples * components,
                  0,
                  ArrayT::VTK_DATA_ARRAY_USER_DEFINED);
  array->SetArrayFreeFunction(vtkArrayOverDetail::releaseKept);
  return array;
}
