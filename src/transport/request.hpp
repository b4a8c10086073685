// Requests to the AAA service over CMF.
#pragma once

#include "aaa_nc/param.hpp"

#include "sysrepo.h"

// Registers the plug-in as a client of the AAA service. A failure is only logged.
void aaaNcCmfClientReg();

// Fills `block` for one request: `oper` decides between set and undo, `length`
// bytes (at most 1012) are copied from `payload`.
void aaaNcParamSet(std::uint32_t eMsgType, sr_change_oper_t oper, std::uint32_t length,
                   const void *payload, AaaNcParam &block);

// Sends `block` in a context of its own and waits for the reply. Returns 0 when
// the service accepted it, else the service's result code, 1 where no context
// was to be had, or the CMF code of the step that failed. A reply whose lengths
// do not agree counts as accepted, on purpose.
int aaaNcCmfSendProc(const AaaNcParam &block);
