// The described tree of the toolkit's windows.
#pragma once

// From now on the platform's tree is this one.
void DescribeWindows();
