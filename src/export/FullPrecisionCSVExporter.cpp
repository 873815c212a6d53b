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
#include <deque>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

CSVExportError::~CSVExportError() = default;

namespace
{

// The text being written: a large buffer filled in place and handed to the file when full, so
// that each field is formatted straight into its final place.
class OutputBuffer
{
public:
  using Flush = std::function<void(const char*, std::size_t)>;

  explicit OutputBuffer(Flush flush)
    : flush(std::move(flush))
    , data(capacity)
  {
  }

  /// Room for n more bytes, flushing what is there when needed.
  char* room(std::size_t n)
  {
    if (used + n > data.size())
    {
      drain();
      if (n > data.size())
        data.resize(n);
    }
    return data.data() + used;
  }
  void advance(char* end) { used = static_cast<std::size_t>(end - data.data()); }
  void put(char c) { *room(1) = c, ++used; }
  void drain()
  {
    if (used > 0)
      flush(data.data(), used);
    used = 0;
  }

private:
  static constexpr std::size_t capacity = 4 << 20;
  Flush flush;
  std::vector<char> data;
  std::size_t used = 0;
};

template<typename T>
void appendNumber(OutputBuffer& out, T value)
{
  if constexpr (std::is_floating_point_v<T>)
  {
    if (std::isnan(value))
      return;
  }
  constexpr std::size_t longest = 64;
  char* start = out.room(longest);
  out.advance(std::to_chars(start, start + longest, value).ptr);
}

void appendText(OutputBuffer& out, const std::string& text)
{
  if (text.find_first_of(",\"\r\n") == std::string::npos)
  {
    char* start = out.room(text.size());
    out.advance(std::copy(text.begin(), text.end(), start));
    return;
  }
  out.put('"');
  for (char c : text)
  {
    if (c == '"')
      out.put('"');
    out.put(c);
  }
  out.put('"');
}

// Appends the fields of one column for one row; one writer per column, chosen once from the
// column's type, so that the per-cell work is a typed read and a format.
class ColumnWriter
{
public:
  virtual ~ColumnWriter() = default;
  virtual void append(OutputBuffer& out, vtkIdType row) const = 0;
};

// The writer of a column of `components` fields per row; `appendField(out, i)` appends the
// field at flat value index i (row * components + component).
template<typename AppendField>
class FieldColumn : public ColumnWriter
{
public:
  FieldColumn(int components, AppendField appendField)
    : components(components)
    , appendField(std::move(appendField))
  {
  }
  void append(OutputBuffer& out, vtkIdType row) const override
  {
    const vtkIdType first = row * components;
    for (int c = 0; c < components; ++c)
    {
      if (c > 0)
        out.put(',');
      appendField(out, first + c);
    }
  }

private:
  int components;
  AppendField appendField;
};

template<typename AppendField>
std::unique_ptr<ColumnWriter> fieldColumn(int components, AppendField appendField)
{
  return std::make_unique<FieldColumn<AppendField>>(components, std::move(appendField));
}

template<typename T>
std::unique_ptr<ColumnWriter> numberColumn(const T* values, int components)
{
  return fieldColumn(components,
                     [values](OutputBuffer& out, vtkIdType i) { appendNumber(out, values[i]); });
}

std::unique_ptr<ColumnWriter> writerFor(vtkAbstractArray& column)
{
  const int components = column.GetNumberOfComponents();
  if (auto* bits = vtkBitArray::SafeDownCast(&column))
    return fieldColumn(components,
                       [bits](OutputBuffer& out, vtkIdType i)
                       { out.put(bits->GetValue(i) ? '1' : '0'); });
  if (auto* texts = vtkStringArray::SafeDownCast(&column))
    return fieldColumn(
      components, [texts](OutputBuffer& out, vtkIdType i) { appendText(out, texts->GetValue(i)); });
  if (auto* data = vtkDataArray::SafeDownCast(&column))
  {
    // Contiguous arrays of the plain numeric types are read through their pointer.
    if (data->HasStandardMemoryLayout())
    {
      switch (data->GetDataType())
      {
        vtkTemplateMacro(
          return numberColumn(static_cast<const VTK_TT*>(data->GetVoidPointer(0)), components));
      }
    }
  }
  // Any other array (variant arrays and the like), through vtkVariant.
  return fieldColumn(components,
                     [&column](OutputBuffer& out, vtkIdType i)
                     {
                       const vtkVariant value = column.GetVariantValue(i);
                       if (value.IsDouble() || value.IsFloat())
                         appendNumber(out, value.ToDouble());
                       else
                         appendText(out, value.ToString());
                     });
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

namespace
{

// Runs a formatting step into a string.
template<typename F>
std::string formatted(F&& write)
{
  std::string text;
  OutputBuffer out([&](const char* data, std::size_t size) { text.append(data, size); });
  write(out);
  out.drain();
  return text;
}

} // namespace

std::string FullPrecisionCSVExporter::formatDouble(double value)
{
  return formatted([&](OutputBuffer& out) { appendNumber(out, value); });
}

std::string FullPrecisionCSVExporter::quoteText(const std::string& text)
{
  return formatted([&](OutputBuffer& out) { appendText(out, text); });
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

  OutputBuffer out(
    [&](const char* data, std::size_t size)
    {
      if (std::fwrite(data, 1, size, file.get()) != size)
        throw CSVExportError("cannot export to \"" + path + "\": " + errnoText());
    });

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
        out.put(',');
      appendText(out, components == 1 ? name : name + ":" + std::to_string(k));
    }
    writers.push_back(writerFor(*column));
    lengths.push_back(column->GetNumberOfTuples());
    widths.push_back(components);
  }
  out.put('\n');

  out.drain();

  // Rows are formatted in blocks on worker threads, the formatting being most of the work, and
  // written in order as they complete; at most a few blocks are held at once.
  const vtkIdType rows = table.GetNumberOfRows();
  const vtkIdType blockRows = 1 << 15;
  const auto formatBlock = [&](vtkIdType first, vtkIdType last)
  {
    std::string text;
    OutputBuffer block([&](const char* data, std::size_t size) { text.append(data, size); });
    for (vtkIdType row = first; row < last; ++row)
    {
      for (vtkIdType c = 0; c < columns; ++c)
      {
        if (c > 0)
          block.put(',');
        const auto index = static_cast<std::size_t>(c);
        if (row < lengths[index])
          writers[index]->append(block, row);
        else
          for (int k = 1; k < widths[index]; ++k)
            block.put(',');
      }
      block.put('\n');
    }
    block.drain();
    return text;
  };
  const auto write = [&](const std::string& text)
  {
    if (!text.empty() && std::fwrite(text.data(), 1, text.size(), file.get()) != text.size())
      throw CSVExportError("cannot export to \"" + path + "\": " + errnoText());
  };
  std::deque<std::future<std::string>> pending;
  for (vtkIdType first = 0; first < rows; first += blockRows)
  {
    pending.push_back(
      std::async(std::launch::async, formatBlock, first, std::min(rows, first + blockRows)));
    if (pending.size() > 2)
    {
      write(pending.front().get());
      pending.pop_front();
    }
  }
  for (auto& block : pending)
    write(block.get());
  if (std::fflush(file.get()) != 0 || std::fclose(file.release()) != 0)
    throw CSVExportError("cannot export to \"" + path + "\": " + errnoText());

  std::error_code error;
  fs::rename(temporary.path, destination, error);
  if (error)
    throw CSVExportError("cannot export to \"" + path + "\": " + error.message());
  temporary.release();
}
