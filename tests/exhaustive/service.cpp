#include "exhaustive/service.hpp"

#include <cstring>

#include "platform/cmf.h"
#include "platform/nlog.h"
#include "platform/sysrepo.h"

namespace aaanc::test
{

Service service;

} // namespace aaanc::test

using aaanc::test::service;

int srp_ll_syslog = 1; // errors

int NLOG_Send(int, const char *, int, int, const char *, ...)
{
    ++service.log_lines;
    return 0;
}

int CMF_ClientServiceReg(const char *, const void *)
{
    return 0;
}

void *CMF_ClientContextInit(const char *, uint32_t, uint32_t)
{
    ++service.opened;
    return &service;
}

int CMF_ClientContextObjSet(void *, const void *record)
{
    std::memcpy(service.object.data(), record, sizeof service.object);
    return 0;
}

int CMF_ClientParamEncode(void *, uint32_t, uint32_t length, const void *data)
{
    const aaanc::test::InPlatform platform;
    service.parameter.assign(static_cast<const char *>(data), length);
    return 0;
}

int CMF_ClientRequestSend(void *)
{
    return 0;
}

int CMF_ClientResponseRecv(void *)
{
    return 0;
}

int CMF_ClientParamDecode(void *, uint32_t *, uint32_t *length, void **data)
{
    *length = service.reported_length;
    *data = service.arrived.get();
    return 0;
}

void CMF_ClientContextClose(void *)
{
    ++service.closed;
}

// No function that is called here reads a key.
char *sr_xpath_key_value(char *, const char *, const char *, sr_xpath_ctx_t *)
{
    return nullptr;
}
