from videoid_evaluate.command import main

raise SystemExit(main())
