#include "views/ImageDiffView.h"

#include "CaseOrder.h"
#include "ChangesWhileHidden.h"
#include "FileLocator.h"
#include "FittedImage.h"
#include "MasterSelection.h"
#include "PropertyEditors.h"
#include "StudyFiles.h"
#include "datamanagement/AuxFile.h"
#include "datamanagement/Project.h"
#include "datamanagement/Record.h"
#include "images/ImageCache.h"
#include "images/ImageFileLoaderInterface.h"
#include "properties/Property.h"
#include "properties/UndoablePropertyProxy.h"
#include "serialization/GenericSerializer.h"
#include "serialize/Serializer.h"
#include "signals/SignalConnectionCollection.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace explorer
{

namespace
{

QRgb heat(int value, int largest)
{
  const double t = largest > 0 ? static_cast<double>(value) / largest : 0.0;
  const auto channel = [t](double start)
  { return static_cast<int>(std::lround(255 * std::clamp(3 * t - start, 0.0, 1.0))); };
  return qRgb(channel(0), channel(1), channel(2));
}

} // namespace

QImage ImageDiffView::absoluteDifference(const QImage& first, const QImage& second, int& largest)
{
  largest = 0;
  if (first.isNull() || second.isNull())
    return {};
  const QImage a = first.convertToFormat(QImage::Format_RGB32);
  QImage b = second.convertToFormat(QImage::Format_RGB32);
  if (b.size() != a.size())
    b = b.scaled(a.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  QImage difference(a.size(), QImage::Format_Grayscale8);
  for (int y = 0; y < a.height(); ++y)
  {
    const auto* rowA = reinterpret_cast<const QRgb*>(a.constScanLine(y));
    const auto* rowB = reinterpret_cast<const QRgb*>(b.constScanLine(y));
    uchar* out = difference.scanLine(y);
    for (int x = 0; x < a.width(); ++x)
    {
      const int d = std::max({ std::abs(qRed(rowA[x]) - qRed(rowB[x])),
                               std::abs(qGreen(rowA[x]) - qGreen(rowB[x])),
                               std::abs(qBlue(rowA[x]) - qBlue(rowB[x])) });
      out[x] = static_cast<uchar>(d);
      largest = std::max(largest, d);
    }
  }
  return difference;
}

QImage ImageDiffView::heatMap(const QImage& difference, int largest)
{
  QImage colored(difference.size(), QImage::Format_RGB32);
  for (int y = 0; y < difference.height(); ++y)
  {
    const uchar* in = difference.constScanLine(y);
    auto* out = reinterpret_cast<QRgb*>(colored.scanLine(y));
    for (int x = 0; x < difference.width(); ++x)
      out[x] = heat(in[x], largest);
  }
  return colored;
}

struct ImageDiffView::Impl
{
  std::shared_ptr<const Project> project;
  boost::shared_ptr<MasterSelection> selection;
  std::shared_ptr<ImageFileLoaderInterface> loader;
  QPointer<QWidget> container;
  // Each image as large as its pane allows: a large one never widens the window.
  FittedImage* panes[3] = { nullptr, nullptr, nullptr };
  QLabel* titles[3] = { nullptr, nullptr, nullptr };
  QLabel* scale = nullptr;
  QLabel* text = nullptr;
  boost::shared_ptr<plexa::UndoablePropertyProxy<bool>> pinned;
  boost::shared_ptr<plexa::UndoablePropertyProxy<unsigned long long>> reference;
  // The tag of the images compared; empty for the first image of the first case.
  boost::shared_ptr<plexa::UndoablePropertyProxy<std::string>> imageTag;
  std::shared_ptr<const FileLocator> files;
  std::shared_ptr<const CaseOrder> order;
  QString noImages;
  std::vector<unsigned long long> compared;
  int largest = 0;

  // The image of a case with the tag, or its first one; empty with the reason when there is none.
  std::shared_ptr<QImage> imageOf(unsigned long long id, std::string& tag, QString& problem) const
  {
    const auto images = studyfiles::imagesOf(project->record(id).lock(), imageTag->value());
    if (images.empty())
    {
      problem = imageTag->value().empty() ? QString("case %1 has no images").arg(id)
                                          : QString("case %1 has no image tagged %2")
                                              .arg(id)
                                              .arg(QString::fromStdString(imageTag->value()));
      return nullptr;
    }
    AuxFile chosen = images.front();
    for (const AuxFile& file : images)
    {
      if (!tag.empty() && !file.tags().empty() && file.tags().front() == tag)
        chosen = file;
    }
    if (tag.empty() && !chosen.tags().empty())
      tag = chosen.tags().front();
    if (const QString missing = files->problem(chosen); !missing.isEmpty())
    {
      problem = QString("case %1: %2").arg(id).arg(missing);
      return nullptr;
    }
    auto image = loader->image(chosen.filePath());
    if (!image || image->isNull())
    {
      problem = QString("case %1: %2 cannot be read")
                  .arg(id)
                  .arg(QString::fromStdString(chosen.relativePath()));
      return nullptr;
    }
    return image;
  }

  std::unique_ptr<ChangesWhileHidden> changes;

  void show(const std::vector<unsigned long long>& ids)
  {
    compared.clear();
    if (pinned->value() && project->record(reference->value()).lock().isNull() == false)
      compared.push_back(reference->value());
    // The cases in the order the user sees them (the table's, once sorted).
    const std::vector<unsigned long long> ordered = order->sorted(ids);
    for (auto id = ordered.begin(); id != ordered.end() && compared.size() < 2; ++id)
      if (compared.empty() || compared.front() != *id)
        compared.push_back(*id);
    largest = 0;
    for (FittedImage* pane : panes)
      pane->clear();
    for (QLabel* label : titles)
      label->clear();
    scale->clear();
    if (compared.size() < 2 || !noImages.isEmpty())
    {
      compared.clear();
      text->setText(noImages.isEmpty()
                      ? "Select two cases, or pin a reference case and select another."
                      : noImages);
      return;
    }
    std::string tag;
    QString problem;
    const auto first = imageOf(compared[0], tag, problem);
    const auto second = first ? imageOf(compared[1], tag, problem) : nullptr;
    for (int i = 0; i < 2; ++i)
      titles[i]->setText(QString("case %1%2")
                           .arg(compared[static_cast<std::size_t>(i)])
                           .arg(i == 0 && pinned->value() ? " (reference)" : ""));
    if (!first || !second)
    {
      text->setText(problem);
      return;
    }
    const QImage difference = absoluteDifference(*first, *second, largest);
    panes[0]->setImage(*first);
    panes[1]->setImage(second->scaled(first->size()));
    panes[2]->setImage(heatMap(difference, largest));
    titles[2]->setText("difference");
    QImage bar(256, 12, QImage::Format_RGB32);
    for (int x = 0; x < bar.width(); ++x)
      for (int y = 0; y < bar.height(); ++y)
        bar.setPixel(x, y, heat(x, 255));
    scale->setPixmap(QPixmap::fromImage(bar));
    text->setText(
      QString("%1: largest difference %2 of 255%3")
        .arg(QString::fromStdString(tag))
        .arg(largest)
        .arg(first->size() != second->size() ? " (second image scaled to the first's size)" : ""));
  }
};

ImageDiffView::ImageDiffView(const ViewContext& context)
  : ViewOfKind(std::make_unique<Serializer>("ImageDifference"), context.selection)
  , d(std::make_unique<Impl>())
{
  d->project = context.project;
  d->selection = context.selection;
  d->files = context.files;
  d->order = context.order;
  d->loader = FileLocator::locating(context.files, context.images->imageLoader());
  if (studyfiles::imageTags(*d->project).empty())
    d->noImages = d->project->auxFiles().empty() ? "This study has no image files."
                                                 : "None of this study's files is an image.";
  d->container = new QWidget();
  setWidget(d->container);
  d->container->setObjectName("imageDifference");
  auto* layout = new QVBoxLayout(d->container);
  layout->setContentsMargins(2, 2, 2, 2);
  auto* pin = new QCheckBox("Keep the first case as the reference");
  layout->addWidget(pin);
  auto* grid = new QGridLayout();
  for (int i = 0; i < 3; ++i)
  {
    d->titles[i] = new QLabel();
    d->panes[i] = new FittedImage();
    grid->addWidget(d->titles[i], 0, i);
    grid->addWidget(d->panes[i], 1, i);
  }
  layout->addLayout(grid, 1);
  for (int i = 0; i < 3; ++i)
    grid->setColumnStretch(i, 1);
  grid->setRowStretch(1, 1);
  auto* scaleRow = new QGridLayout();
  d->scale = new QLabel();
  scaleRow->addWidget(new QLabel("same"), 0, 0);
  scaleRow->addWidget(d->scale, 0, 1);
  scaleRow->addWidget(new QLabel("largest"), 0, 2);
  layout->addLayout(scaleRow);
  d->text = new QLabel();
  d->text->setWordWrap(true);
  layout->addWidget(d->text);

  d->pinned = boost::make_shared<plexa::UndoablePropertyProxy<bool>>(
    "Pinned Reference", boost::make_shared<plexa::Property<bool>>(false));
  d->reference = boost::make_shared<plexa::UndoablePropertyProxy<unsigned long long>>(
    "Reference Case", boost::make_shared<plexa::Property<unsigned long long>>(0));
  Impl* impl = d.get();
  d->changes = std::make_unique<ChangesWhileHidden>(
    *d->container,
    *context.selection,
    ChangesWhileHidden::Steps{ {}, [impl](const auto& ids) { impl->show(ids); }, {} });
  QObject::connect(pin, &QCheckBox::toggled, d->container, [this](bool on) { pinReference(on); });
  connections().add(d->pinned->connectSignalPropertyChanged(
    [impl, pin]
    {
      const QSignalBlocker blocker(pin);
      pin->setChecked(impl->pinned->value());
      impl->changes->changed(false);
    }));
  connections().add(
    d->reference->connectSignalPropertyChanged([impl] { impl->changes->changed(false); }));
  d->imageTag = boost::make_shared<plexa::UndoablePropertyProxy<std::string>>(
    "Image Tag", boost::make_shared<plexa::Property<std::string>>(std::string()));
  for (const plexa::PropertyItemInterface* followed :
       std::initializer_list<const plexa::PropertyItemInterface*>{
         d->imageTag.get(), context.files->locations().get() })
    connections().add(
      followed->connectSignalPropertyChanged([impl] { impl->changes->changed(false); }));
  connections().add(context.order->connectChanged([impl] { impl->changes->changed(false); }));
  connections().add(context.selection->connectCasesChanged(
    [impl](const MasterSelection::SharedCases& ids) { impl->changes->selectionChanged(*ids); }));
  // The case first, then the pin: a pin read back refers to the case read just before.
  saveSetting(
    boost::make_shared<GenericSerializer<unsigned long long>>("ReferenceCase", d->reference),
    "a case id");
  saveSetting(boost::make_shared<GenericSerializer<bool>>("PinnedReference", d->pinned), "0 or 1");
  saveSetting(boost::make_shared<GenericSerializer<std::string>>("ImageTag", d->imageTag));
}

ImageDiffView::~ImageDiffView() = default;

std::vector<SettingsSection> ImageDiffView::settingsSections(PropertyEditors& editors)
{
  auto* box = new QWidget();
  auto* form = new QFormLayout(box);
  form->addRow("Images", editors.tagChooser(d->imageTag, "(first image)"));
  return { { title(), box } };
}

std::string ImageDiffView::selectionSummary() const
{
  d->changes->catchUp();
  if (d->compared.size() < 2)
    return "nothing compared";
  return "case " + std::to_string(d->compared[0]) + " against " + std::to_string(d->compared[1]) +
         ", largest difference " + std::to_string(d->largest);
}

void ImageDiffView::suspendParts() {}

void ImageDiffView::resumeParts()
{
  d->changes->changed(false);
}

void ImageDiffView::refresh()
{
  d->container->update();
}

void ImageDiffView::pinReference(bool pinned)
{
  const auto& ids = *d->selection->cases();
  if (pinned && !ids.empty() && !d->pinned->value())
    d->reference->setValue(ids.front());
  d->pinned->setValue(pinned && !ids.empty());
}

std::vector<unsigned long long> ImageDiffView::comparedCases() const
{
  d->changes->catchUp();
  return d->compared;
}

QString ImageDiffView::message() const
{
  d->changes->catchUp();
  return d->text->text();
}

int ImageDiffView::largestDifference() const
{
  d->changes->catchUp();
  return d->largest;
}

} // namespace explorer
