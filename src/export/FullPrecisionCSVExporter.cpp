#include "export/FullPrecisionCSVExporter.h"

#include <vtkAbstractArray.h>
#include <vtkBitArray.h>
#include <vtkDataArray.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkVariant.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

CSVExportError::~CSVExportError() = default;

namespace
{

template <typename T>
void appendNumber(std::string& out, T value)
{
  if constexpr (std::is_floating_point_v<T>)
  {
    if (std::isnan(value))
      return;
  }
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, result.ptr);
}

void appendText(std::string& out, const std::string& text)
{
  if (text.find_first_of(",\"\r\n") == std::string::npos)
  {
    out += text;
    return;
  }
  out.push_back('"');
  for (char c : text)
  {
    if (c == '"')
      out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
}

// Appends the fields of one column for one row; one writer per column, chosen once from the
// column's type, so that the per-cell work is a typed read and a format.
class ColumnWriter
{
public:
  virtual ~ColumnWriter() = default;
  virtual void append(std::string& out, vtkIdType row) const = 0;
};

template <typename T>
class NumberColumn : public ColumnWriter
{
public:
  NumberColumn(const T* values, int components)
    : values(values)
    , components(components)
  {
  }
  void append(std::string& out, vtkIdType row) const override
  {
    const T* tuple = values + row * components;
    for (int c = 0; c < components; ++c)
    {
      if (c > 0)
        out.push_back(',');
      appendNumber(out, tuple[c]);
    }
  }

private:
  const T* values;
  int components;
};

class BitColumn : public ColumnWriter
{
public:
  explicit BitColumn(vtkBitArray& bits)
    : bits(bits)
  {
  }
  void append(std::string& out, vtkIdType row) const override
  {
    const int components = bits.GetNumberOfComponents();
    for (int c = 0; c < components; ++c)
    {
      if (c > 0)
        out.push_back(',');
      out.push_back(bits.GetValue(row * components + c) ? '1' : '0');
    }
  }

private:
  vtkBitArray& bits;
};

class TextColumn : public ColumnWriter
{
public:
  explicit TextColumn(vtkStringArray& texts)
    : texts(texts)
  {
  }
  void append(std::string& out, vtkIdType row) const override
  {
    const int components = texts.GetNumberOfComponents();
    for (int c = 0; c < components; ++c)
    {
      if (c > 0)
        out.push_back(',');
      appendText(out, texts.GetValue(row * components + c));
    }
  }

private:
  vtkStringArray& texts;
};

// Any other array (variant arrays and the like), through vtkVariant.
class VariantColumn : public ColumnWriter
{
public:
  explicit VariantColumn(vtkAbstractArray& array)
    : array(array)
  {
  }
  void append(std::string& out, vtkIdType row) const override
  {
    const int components = array.GetNumberOfComponents();
    for (int c = 0; c < components; ++c)
    {
      if (c > 0)
        out.push_back(',');
      const vtkVariant value = array.GetVariantValue(row * components + c);
      if (value.IsDouble() || value.IsFloat())
        appendNumber(out, value.ToDouble());
      else
        appendText(out, value.ToString());
    }
  }

private:
  vtkAbstractArray& array;
};

std::unique_ptr<ColumnWriter> writerFor(vtkAbstractArray& column)
{
  const int components = column.GetNumberOfComponents();
  if (auto* bits = vtkBitArray::SafeDownCast(&column))
    return std::make_unique<BitColumn>(*bits);
  if (auto* texts = vtkStringArray::SafeDownCast(&column))
    return std::make_unique<TextColumn>(*texts);
  if (auto* data = vtkDataArray::SafeDownCast(&column))
  {
    // Contiguous arrays of the plain numeric types are read through their pointer.
    if (data->HasStandardMemoryLayout())
    {
      switch (data->GetDataType())
      {
        vtkTemplateMacro(return std::make_unique<NumberColumn<VTK_TT>>(
          static_cast<const VTK_TT*>(data->GetVoidPointer(0)), components));
      }
    }
  }
  return std::make_unique<VariantColumn>(column);
}

std::string errnoText()
{
  return std::strerror(errno);
}

// The temporary file beside the destination, removed unless release() is called.
class TemporaryFile
{
public:
  explicit TemporaryFile(const fs::path& destination)
  {
    static std::atomic<unsigned> counter{ 0 };
    const std::string name = "." + destination.filename().string() + ".tmp-" +
      std::to_string(::getpid()) + "-" + std::to_string(counter++);
    path = destination.parent_path() / name;
  }
  ~TemporaryFile()
  {
    if (!released)
    {
      std::error_code ignored;
      fs::remove(path, ignored);
    }
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void release() { released = true; }

  fs::path path;

private:
  bool released = false;
};

struct FileCloser
{
  void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

std::string FullPrecisionCSVExporter::formatDouble(double value)
{
  std::string text;
  appendNumber(text, value);
  return text;
}

std::string FullPrecisionCSVExporter::quoteText(const std::string& text)
{
  std::string field;
  appendText(field, text);
  return field;
}

void FullPrecisionCSVExporter::writeCSVFile(vtkTable& table, const std::string& path) const
{
  const fs::path destination(path);
  if (destination.filename().empty())
    throw CSVExportError("cannot export to \"" + path + "\": it names no file");
  TemporaryFile temporary(destination);
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(temporary.path.c_str(), "wb"));
  if (!file)
    throw CSVExportError("cannot export to \"" + path + "\": " + errnoText());

  std::string out;
  const std::size_t flushSize = 1 << 20;
  out.reserve(flushSize + 4096);
  const auto flush = [&] {
    if (!out.empty() && std::fwrite(out.data(), 1, out.size(), file.get()) != out.size())
      throw CSVExportError("cannot export to \"" + path + "\": " + errnoText());
    out.clear();
  };

  std::vector<std::unique_ptr<ColumnWriter>> writers;
  // A column shorter than the table (which a hand-made table can have) gets empty fields for
  // the rows it lacks, rather than a read past its end.
  std::vector<vtkIdType> lengths;
  std::vector<int> widths;
  const vtkIdType columns = table.GetNumberOfColumns();
  for (vtkIdType c = 0; c < columns; ++c)
  {
    vtkAbstractArray* column = table.GetColumn(c);
    const int components = column->GetNumberOfComponents();
    const std::string name = column->GetName() ? column->GetName() : "";
    for (int k = 0; k < components; ++k)
    {
      if (c > 0 || k > 0)
        out.push_back(',');
      appendText(out, components == 1 ? name : name + ":" + std::to_string(k));
    }
    writers.push_back(writerFor(*column));
    lengths.push_back(column->GetNumberOfTuples());
    widths.push_back(components);
  }
  out.push_back('\n');

  const vtkIdType rows = table.GetNumberOfRows();
  for (vtkIdType row = 0; row < rows; ++row)
  {
    for (vtkIdType c = 0; c < columns; ++c)
    {
      if (c > 0)
        out.push_back(',');
      const auto index = static_cast<std::size_t>(c);
      if (row < lengths[index])
        writers[index]->append(out, row);
      else
        out.append(static_cast<std::size_t>(std::max(widths[index] - 1, 0)), ',');
    }
    out.push_back('\n');
    if (out.size() >= flushSize)
      flush();
  }
  flush();
  if (std::fflush(file.get()) != 0 || std::fclose(file.release()) != 0)
    throw CSVExportError("cannot export to \"" + path + "\": " + errnoText());

  std::error_code error;
  fs::rename(temporary.path, destination, error);
  if (error)
    throw CSVExportError("cannot export to \"" + path + "\": " + error.message());
  temporary.release();
}
