# Installation comes with the packages.
