// Conditions on any field of the grid's template, those that an installation added among them.
#pragma once

#include <string>

#include "workbench/question.h"
#include "workbench/statement.h"

namespace tessarlorn::workbench {

/// Adds the condition on an order that a text such as "FWeight>=1.5" stands for: the key of a field, =, ~ (a part of a
/// text), >= or <=, and a value. Raises WrongValue for another form, a field that is not in the template or not kept
/// with orders, and a value of another kind.
/// @param place counts the conditions of a statement
void AddFieldCondition(Statement& statement, Connection& connection, const std::string& text, std::size_t place);

}  // namespace tessarlorn::workbench
