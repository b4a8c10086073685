#include "reporter.hpp"

namespace aaanc
{

void Reporter::stageBegins(const StageRecord &stage)
{
    summary_.commits += stage.kind == StageKind::Edit ? 1 : 0;
    writer_.stage(stage);
}

void Reporter::callbackBegins(const Notification &notification)
{
    ++summary_.callbacks;
    in_callback_ = true;
    callback_ = {summary_.callbacks, notification.subtree, notification.event,
                 notification.changes->size()};
    writer_.callbackBegins(callback_);
}

void Reporter::callbackEnded(const Notification & /*notification*/, int result)
{
    summary_.failed_callbacks += result != 0 ? 1 : 0;
    in_callback_ = false;
    callback_.result = result;
    writer_.callbackEnded(callback_);
}

void Reporter::exchanged(const Exchange &exchange)
{
    ++summary_.requests;
    const Bytes &block = exchange.request.parameter.data;
    const RequestRecord record{summary_.requests, in_callback_ ? callback_.number : 0, block,
                               decodeRequest(block), answerOf(exchange)};
    ++(!record.answer.result        ? summary_.unanswered
       : *record.answer.result == 0 ? summary_.accepted
                                    : summary_.refused);
    writer_.request(record);
}

} // namespace aaanc
