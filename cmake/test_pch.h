#pragma once
#include "pch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
