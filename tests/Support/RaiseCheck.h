#pragma once

// Runs code that must raise through the logger, and checks the category and the exact message. It captures
// the log itself, so no other LogCapture may be alive around it.

#include "Debug/Exception.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>
#include <string>

template <typename Function>
void ExpectRaise(Function&& function, const std::string& category, const std::string& message)
{
    LogCapture capture;
    try
    {
        function();
        ADD_FAILURE() << "no raise; expected: " << message;
    }
    catch (const Debug::Exception& exception)
    {
        EXPECT_EQ(exception.what(), message);
        const std::vector<std::string> fatal = capture.Messages(category, LogLevel::Fatal);
        ASSERT_EQ(fatal.size(), 1u) << "no Fatal line in category " << category;
        EXPECT_TRUE(fatal[0].starts_with("Exception: " + message + "\n")) << fatal[0];
    }
}
