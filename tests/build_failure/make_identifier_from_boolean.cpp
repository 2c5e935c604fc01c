// expect: conversion|no viable|could not convert
#include <kestrel/identity/object_id.h>

using namespace kestrel;

#ifdef KESTREL_CORRECT
ObjectID<Contact> id = 1;
#else
ObjectID<Contact> id = true;
#endif
