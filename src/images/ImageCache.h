#pragma once

#include "images/CachingImageLoaderAbstract.h"

#include <memory>

/// The image cache that reads files. It keeps only weak references: an image stays
/// in memory exactly as long as some client holds it, and two views showing one file share one
/// decoded image. Views reach it through clients (imageLoader()), each caching the images it
/// asked for, which keeps them alive in the shared cache.
///
/// A file is read through one QImageReader whose declared size is checked first: an image of
/// more pixels than the cache's budget (64 megapixels by default; for a GIF its logical screen
/// counts too) is treated as unreadable, so a small hostile file cannot make the decoder allocate
/// gigabytes. Missing, unreadable and refused files give a null image.
class QUEN_ANALYZER_DATAVIEWS_COMMON_EXPORT ImageCache
{
public:
  /// The shared cache, defined in the private header ImageCache_p.h.
  class Impl;

  ImageCache();
  virtual ~ImageCache();

  /// A new client bound to the shared cache; it stays usable after this object is gone.
  std::shared_ptr<ImageFileLoaderInterface> imageLoader() const;
  /// The shared cache itself, for a user that keeps only what it makes of an image (the image
  /// matrix keeps its scaled copies): it gives the decoded image that some client holds, or
  /// decodes the file, and keeps nothing, so an original lives only while its user holds it.
  std::shared_ptr<ImageFileLoaderInterface> sharedLoader() const;

  /// The largest image, in pixels, that this cache's clients decode files to; a change applies
  /// to the files read from then on.
  long long pixelBudget() const;
  void setPixelBudget(long long pixels);

private:
  std::shared_ptr<Impl> d;
};
