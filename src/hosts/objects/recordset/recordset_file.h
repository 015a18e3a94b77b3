// The rows of a recordset as a file or text: ADO's XML, or lines of text.
#pragma once

#include <string>

#include "hosts/objects/recordset/recordset_view.h"

namespace tessarlorn {

/// Writes the shown rows to a new file, in UTF-8. As XML in the form that ADO reads again; otherwise a line of names
/// and one a row, with tabs between the values. A character that the form cannot hold becomes `?` in XML and a blank in
/// text. Raises 58 when there is such a file, 76 naming the path when it cannot be written, 61 when the disk is full;
/// no part of a file is left when anything is raised.
void SaveRecordset(const RecordsetView& view, const std::string& path, bool as_xml);
/// The same XML as a text.
std::string RecordsetXml(const RecordsetView& view);

}  // namespace tessarlorn
