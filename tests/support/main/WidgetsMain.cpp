#include <gtest/gtest.h>
#include <QtWidgets/QApplication>

#include "support/PrivateEnvironment.h"

int main(int argc, char** argv) {
  const quillmere::testing::PrivateEnvironment environment;
  ::testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
