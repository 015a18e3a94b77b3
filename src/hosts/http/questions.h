// The questions of the workbench as clients ask them: POST /api/v1/workbench/NAME with an object.
#pragma once

#include <string_view>

#include "hosts/http/call.h"
#include "hosts/http/transport/message.h"
#include "workbench/question.h"

namespace tessarlorn::http {

/// The question of a path behind "/api/v1/workbench/". Raises Refusal 404 with the nearest one.
const workbench::Question& QuestionOfPath(std::string_view name);

/// What a question is asked with, in the types of its keys. Raises Refusal: 400 for what is no JSON object, has unknown
/// or missing keys or a query, 403 when the caller's role may not call the operation whose right it needs, 405, 406 for
/// another format than JSON, 415, 422 for a value that is not as its key wants it.
Dictionary ReadQuestion(const workbench::Question& question, const Request& request, const Target& target,
                        const Caller& caller);

workbench::Asker AskerOf(const Caller& caller);

/// The call of the operation that answers a question. Raises Refusal 403 when the caller's role may not call it.
/// @param client address of the client
Call CallOf(const workbench::OperationCall& asked, const Caller& caller, std::string_view database,
            std::string_view client);

}  // namespace tessarlorn::http
