// Nothing: the headers that the tests share are precompiled once, as part of the target that this makes.
