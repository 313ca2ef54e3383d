// SPDX-License-Identifier: MIT

#pragma once

/// \file
/// Whether this build is sanitized, which makes some tests twenty times as slow. Each compiler says
/// so in its own way.

#if defined(__SANITIZE_ADDRESS__)
#define PELLUVIA_TESTS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PELLUVIA_TESTS_SANITIZED 1
#endif
#endif
#ifndef PELLUVIA_TESTS_SANITIZED
#define PELLUVIA_TESTS_SANITIZED 0
#endif
