// The numbers of the test's resources.
#pragma once

#define IDS_LABEL 1  // the add-on has one of this number too
#define IDS_OWN 40
