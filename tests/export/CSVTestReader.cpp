#include "export/CSVTestReader.h"

std::vector<std::vector<std::string>> readCSV(const std::string& text)
{
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> row;
  std::string field;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i)
  {
    const char c = text[i];
    if (quoted)
    {
      if (c == '"' && i + 1 < text.size() && text[i + 1] == '"')
      {
        field.push_back('"');
        ++i;
      }
      else if (c == '"')
        quoted = false;
      else
        field.push_back(c);
    }
    else if (c == '"')
      quoted = true;
    else if (c == ',')
    {
      row.push_back(field);
      field.clear();
    }
    else if (c == '\n')
    {
      row.push_back(field);
      field.clear();
      rows.push_back(row);
      row.clear();
    }
    else
      field.push_back(c);
  }
  if (!field.empty() || !row.empty())
  {
    row.push_back(field);
    rows.push_back(row);
  }
  return rows;
}
