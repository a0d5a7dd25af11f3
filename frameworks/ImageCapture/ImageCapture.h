// SPDX-License-Identifier: MIT
// Umbrella header: what this system needs of the platform's ImageCapture, under the platform's own
// names.
#pragma once

#include <ImageCapture/ICAApplication.h>
#include <ImageCapture/NetworkCameras.h>
