// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "Platform/Linux/CurlURLLoading.h"
#include "ScriptedServer.h"
#include "Support/TestPlatform.h"

namespace tovi {

/// The test platform with a real network and one server that stands for all services.
struct WebFixture
{
    WebFixture()
        : server([this](const ScriptedServer::Request &request, ScriptedServer::Reply &reply) {
            answer(request, reply);
        })
    {
        platform.useNetwork(std::make_unique<CurlURLLoading>(platform.clock(), platform.systemLog()));
        qputenv("TOVI_GOOGLE_ORIGIN", server.origin().toUtf8());
        qputenv("TOVI_DICTIONARY_BASE_URL", server.origin().toUtf8() + "/api/v2/entries/en/");
    }
    ~WebFixture()
    {
        qunsetenv("TOVI_GOOGLE_ORIGIN");
        qunsetenv("TOVI_DICTIONARY_BASE_URL");
    }

    /// To be set before the first request.
    ScriptedServer::Handler answer;
    TestPlatform platform;
    ScriptedServer server;
};

} // namespace tovi
