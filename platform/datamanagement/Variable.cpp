#include "datamanagement/Variable.h"

#include "datamanagement/ProjectData_p.h"

unsigned long long Variable::id() const
{
  return d ? d->id : 0;
}

std::string Variable::name() const
{
  return d ? d->name : std::string();
}

Variable::Nature Variable::nature() const
{
  return d ? d->nature : Continuous;
}

Variable::Role Variable::role() const
{
  return d ? d->role : Unknown;
}

std::pair<double, double> Variable::range() const
{
  return d ? d->range : std::pair<double, double>(0.0, 0.0);
}
