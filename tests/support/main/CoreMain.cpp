#include <gtest/gtest.h>
#include <QtCore/QCoreApplication>

#include "support/PrivateEnvironment.h"

int main(int argc, char** argv) {
  const quillmere::testing::PrivateEnvironment environment;
  ::testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
