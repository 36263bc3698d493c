// Without its assembler code the JPEG coder works, several times slower, and nothing else would tell.

#include <gtest/gtest.h>

extern "C" {
int jsimd_can_rgb_ycc(void);
int jsimd_can_ycc_rgb(void);
int jsimd_can_fdct_islow(void);
int jsimd_can_idct_islow(void);
int jsimd_can_huff_encode_one_block(void);
}

TEST(JpegCoder, UsesTheProcessorsVectorUnits) {
  EXPECT_TRUE(jsimd_can_rgb_ycc() && jsimd_can_ycc_rgb() && jsimd_can_fdct_islow() &&
              jsimd_can_idct_islow() && jsimd_can_huff_encode_one_block());
}
