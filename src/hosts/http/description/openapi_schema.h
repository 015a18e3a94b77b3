// What requests and answers of an operation look like, as JSON Schema made from its contract.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "tessarlorn/operations.h"
#include "workbench/question.h"

namespace tessarlorn::http {

using SchemaJson = nlohmann::ordered_json;

/// A text of a contract so that Markdown shows it as it is.
std::string MarkdownText(std::string_view text);

/// The reference to a schema of the description's components.
SchemaJson SchemaReference(const std::string& name);

/// The body of a call: an object with an entry for each argument. Connection strings are left out.
SchemaJson RequestSchema(const Operation& operation);

/// The arguments as parameters of a query, "Argument" or "Argument.Key"; null when they do not fit there: one is a
/// Vector, holds one, or takes keys of any name.
SchemaJson QuerySchema(const Operation& operation);

/// A row of the recordset that the operation answers; null when it answers none, or the columns are not fixed.
SchemaJson RowSchema(const Operation& operation);

/// A row that a question of the workbench answers.
SchemaJson QuestionRowSchema(const workbench::Question& question);

/// A recordset. @param row_name the schema of a row
SchemaJson RecordsetSchema(const std::string& row_name);

/// What a question of the workbench is asked with.
SchemaJson QuestionSchema(const workbench::Question& question);

/// The JSON that the operation answers. @param row_name the schema of a row
SchemaJson AnswerSchema(const Operation& operation, const std::string& row_name);

}  // namespace tessarlorn::http
