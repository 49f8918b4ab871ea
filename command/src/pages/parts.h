// What pages are made of: pictures and tables of results.
#pragma once

#include <functional>
#include <string>

#include "assess/entries.h"
#include "files/output_files.h"

namespace qarv::command {

/// A picture as an element of a page.
/// @param[in] beside  the page, in whose folder it is drawn
/// @param[in] draw    draws it as .svg into a file
std::string Figure(const std::string& beside, OutputFiles* files,
                   const std::function<void(const std::string& file)>& draw);

/// Results as a table.
std::string Table(const assess::Entries& entries);

}  // namespace qarv::command
