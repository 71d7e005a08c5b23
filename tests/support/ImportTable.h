// What a Windows module calls of others goes through a table, which can be changed. For Windows alone.
#pragma once

#include <string>

namespace xelttest {

// Makes a loaded module call the replacement in place of the function that it imports under the name, which for
// C++ is the decorated one. An empty module is the program itself. Answers with what was called before; null when
// the module is not there or imports no such function.
void *replaceImport(const std::string &sModule, const std::string &sFunction, void *pReplacement);

} // namespace xelttest
