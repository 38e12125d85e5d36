#include "system/standard_error.h"

#include <iostream>

void complain(const QString& line) { std::cerr << "dravolt: " << line.toLocal8Bit().constData() << '\n'; }
