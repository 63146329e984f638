#include "Sockets.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

void makeAndCloseSocket() {
  const int made = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(made, 0);
  EXPECT_EQ(close(made), 0);
}
