#include "datamanagement/CsvTokenizer_p.h"

#include "datamanagement/StudyFormatError.h"

#include <cstdint>
#include <cstring>

CsvTokenizer::CsvTokenizer(std::string_view text, std::string fileName)
  : CsvTokenizer(text, std::move(fileName), ',')
{
}

CsvTokenizer::CsvTokenizer(std::string_view text, std::string fileName, char separator)
  : text(text)
  , fileName(std::move(fileName))
  , separator(separator)
{
}

void CsvTokenizer::seek(std::size_t position, std::size_t lineNumber)
{
  offset = position;
  currentLine = lineNumber;
  lineStart = position;
}

bool CsvTokenizer::next(std::vector<Field>& fields)
{
  fields.clear();
  cut = false;
  if (!unescaped.empty())
  {
    unescaped.clear();
  }
  const std::size_t size = text.size();

  // Skip empty lines.
  while (offset < size && (text[offset] == '\n' || text[offset] == '\r'))
  {
    if (text[offset] == '\n')
    {
      ++currentLine;
      lineStart = offset + 1;
    }
    ++offset;
  }
  if (offset >= size)
  {
    return false;
  }
  line = currentLine;
  const std::size_t recordStart = offset;
  const std::size_t recordLineStart = lineStart;

  while (true)
  {
    Field field;
    field.column = offset - lineStart + 1;
    if (offset < size && text[offset] == '"')
    {
      const std::size_t openLine = currentLine;
      const std::size_t openColumn = field.column;
      std::string value;
      ++offset;
      bool closed = false;
      while (offset < size)
      {
        const char c = text[offset];
        if (c == '"')
        {
          if (offset + 1 < size && text[offset + 1] == '"')
          {
            value.push_back('"');
            offset += 2;
            continue;
          }
          ++offset;
          closed = true;
          break;
        }
        if (c == '\n')
        {
          ++currentLine;
          lineStart = offset + 1;
        }
        value.push_back(c);
        ++offset;
      }
      if (!closed && moreToCome)
      {
        offset = recordStart;
        currentLine = line;
        lineStart = recordLineStart;
        fields.clear();
        cut = true;
        return false;
      }
      if (!closed)
      {
        throw StudyFormatError(fileName, openLine, openColumn, "quoted field is not closed");
      }
      if (offset < size && text[offset] != separator && text[offset] != '\n' &&
          text[offset] != '\r')
      {
        throw StudyFormatError(fileName,
                               currentLine,
                               offset - lineStart + 1,
                               "unexpected character after a closing quote");
      }
      unescaped.push_back(std::move(value));
      field.text = unescaped.back();
    }
    else
    {
      const std::size_t start = offset;
      while (offset < size && text[offset] != separator && text[offset] != '\n' &&
             text[offset] != '\r')
      {
        ++offset;
      }
      field.text = text.substr(start, offset - start);
    }
    fields.push_back(field);

    if (offset >= size)
    {
      return true;
    }
    if (text[offset] == separator)
    {
      ++offset;
      continue;
    }
    // End of the record: consume "\r\n" or "\n" (a lone "\r" ends it too).
    if (text[offset] == '\r')
    {
      ++offset;
    }
    if (offset < size && text[offset] == '\n')
    {
      ++offset;
    }
    ++currentLine;
    lineStart = offset;
    return true;
  }
}

std::pair<std::size_t, std::size_t> firstInvalidUtf8(std::string_view text)
{
  std::size_t line = 1;
  std::size_t lineStart = 0;
  std::size_t i = 0;
  const std::size_t size = text.size();
  while (i < size)
  {
    // Plain ASCII, most of a study, is checked eight bytes at a time.
    if (i + 8 <= size)
    {
      std::uint64_t chunk;
      std::memcpy(&chunk, text.data() + i, sizeof chunk);
      if ((chunk & 0x8080808080808080ULL) == 0)
      {
        for (std::size_t k = 0; k < 8; ++k)
        {
          if (text[i + k] == '\n')
          {
            ++line;
            lineStart = i + k + 1;
          }
        }
        i += 8;
        continue;
      }
    }
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x80)
    {
      if (c == '\n')
      {
        ++line;
        lineStart = i + 1;
      }
      ++i;
      continue;
    }
    std::size_t length = 0;
    unsigned minimum = 0;
    unsigned codePoint = 0;
    if ((c & 0xE0) == 0xC0)
    {
      length = 2;
      minimum = 0x80;
      codePoint = c & 0x1F;
    }
    else if ((c & 0xF0) == 0xE0)
    {
      length = 3;
      minimum = 0x800;
      codePoint = c & 0x0F;
    }
    else if ((c & 0xF8) == 0xF0)
    {
      length = 4;
      minimum = 0x10000;
      codePoint = c & 0x07;
    }
    bool valid = length != 0 && i + length <= size;
    for (std::size_t k = 1; valid && k < length; ++k)
    {
      const auto next = static_cast<unsigned char>(text[i + k]);
      valid = (next & 0xC0) == 0x80;
      codePoint = (codePoint << 6) | (next & 0x3F);
    }
    // Overlong forms, UTF-16 surrogates and values past U+10FFFF are not UTF-8.
    if (!valid || codePoint < minimum || codePoint > 0x10FFFF ||
        (codePoint >= 0xD800 && codePoint <= 0xDFFF))
    {
      return { line, i - lineStart + 1 };
    }
    i += length;
  }
  return { 0, 0 };
}
