#include "Graphics/Bitmap.h"
#include "Support/LogCapture.h"

#include <gtest/gtest.h>

namespace
{

TEST(Bitmap, ATextureLeftOnTheCardIsReportedWhenTheBitmapDies)
{
    const LogCapture log;
    {
        const Graphics::Bitmap plain(1, 1, std::make_unique<uint8_t[]>(4), "plain.png");
    }
    EXPECT_TRUE(log.Entries().empty());
    {
        Graphics::Bitmap onCard(1, 1, std::make_unique<uint8_t[]>(4), "card.png");
        onCard.texture = 7;
    }
    EXPECT_EQ(log.Messages("Graphics", LogLevel::Error),
              std::vector<std::string>{"Bitmap texture handle leaked!"});
}

} // namespace
